template <> template <> class A<int>::B<double>;
struct X<IntHolder, long>::Inner;
struct A<int>::B<char> named;
