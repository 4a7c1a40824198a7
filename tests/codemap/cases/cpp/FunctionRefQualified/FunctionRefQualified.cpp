struct A {
    int get() &;
    int get() && noexcept { return 1; }
    int get() const volatile &;
};
