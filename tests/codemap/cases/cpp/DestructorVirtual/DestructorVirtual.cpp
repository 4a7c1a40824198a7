class A {
    virtual ~A();
    virtual ~A() = 0;
};
