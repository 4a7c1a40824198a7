class A {
    friend class B;
    friend struct sea::C;
    friend D;
    int a;
};
