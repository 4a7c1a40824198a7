static_assert(sizeof(int) == 4, "four {");
struct A { static_assert(true); int a; };
