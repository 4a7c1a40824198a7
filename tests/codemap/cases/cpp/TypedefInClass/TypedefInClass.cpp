class A {
    typedef int value_type;
    typedef void (*Handler)(int);
};
