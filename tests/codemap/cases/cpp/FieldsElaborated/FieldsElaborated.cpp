struct A {
    struct B *next;
    enum Kind kind;
    class C &other;
};
