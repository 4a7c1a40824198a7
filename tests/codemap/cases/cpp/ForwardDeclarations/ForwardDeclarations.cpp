class A;
struct B;
template <typename T> class C;
union D;
int after;
