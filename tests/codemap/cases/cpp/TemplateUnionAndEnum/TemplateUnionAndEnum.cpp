template <typename T> union Either { T a; int b; };
template <typename T> struct A { enum { value = T::value }; };
