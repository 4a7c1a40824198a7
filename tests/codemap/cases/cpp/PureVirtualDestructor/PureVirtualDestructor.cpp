struct A {
    virtual ~A() noexcept = 0;
    virtual int run(int) const = 0;
};
