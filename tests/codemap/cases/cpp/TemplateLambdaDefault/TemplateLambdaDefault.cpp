template <auto F = [] { return 1; }> struct A { int a; };
int after;
