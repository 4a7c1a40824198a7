struct A {
    A() : A(1) {}
    A(int) {}
};
