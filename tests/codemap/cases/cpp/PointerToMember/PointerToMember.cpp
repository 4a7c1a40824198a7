int (A::*call)(int) = &A::run;
int A::*field = &A::a;
