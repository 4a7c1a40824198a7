struct A { int a; } *first, second[2];
