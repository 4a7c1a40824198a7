struct A {
    int operator()() { return 1; }
    int operator()(int) const { return 2; }
};
