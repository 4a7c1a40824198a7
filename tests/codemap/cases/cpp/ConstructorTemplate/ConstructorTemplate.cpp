struct A { template <typename T> A(T &&value) : a(value) {} int a; };
