struct A {
    A(const A &) = delete;
    A &operator=(A &&) = delete;
    ~A() = default;
};
