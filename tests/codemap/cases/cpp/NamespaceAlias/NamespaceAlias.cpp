namespace fs = std::filesystem;
using namespace std;
using std::vector;
int after;
