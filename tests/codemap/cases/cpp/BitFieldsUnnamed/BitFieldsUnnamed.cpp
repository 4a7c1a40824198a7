struct A { unsigned a : 1; unsigned : 3; unsigned b : 2, c : 1; };
