struct A { using enum Color; int a; };
