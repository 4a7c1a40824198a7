class A {
public:
    enum Kind { one };
    struct B { int a; };
};
