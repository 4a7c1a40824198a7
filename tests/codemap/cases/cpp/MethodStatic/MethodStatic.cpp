struct A {
    static A *shared();
    static int count() { return 1; }
};
