struct A { int a() const volatile; int b() &&; };
