struct A {
    explicit(true) A(int a);
    constexpr A() noexcept(false) {}
};
