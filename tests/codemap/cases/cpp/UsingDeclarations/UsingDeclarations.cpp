using std::string;
using namespace std;
struct A : B { using B::B; using B::run; int a; };
