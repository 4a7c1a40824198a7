struct A {
    A(A &&other) noexcept : a(other.a) {}
    A(int) noexcept(false) {}
    int a;
};
