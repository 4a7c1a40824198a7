class A {
    explicit A(int a) : a_(a) {}
    int a_;
};
