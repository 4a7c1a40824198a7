struct A {
    const char *const name;
    int const &reference;
    volatile int *volatile place;
};
