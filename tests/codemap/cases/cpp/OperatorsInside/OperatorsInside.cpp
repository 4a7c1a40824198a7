struct A {
    A operator+(const A &) const;
    A &operator=(const A &) = default;
    bool operator==(const A &) const = default;
    auto operator<=>(const A &) const = default;
    int operator()(int) const;
    int operator[](int);
    A *operator->();
    A &operator++();
    A operator++(int);
    void *operator new(size_t);
    void operator delete[](void *);
    operator bool() const;
    explicit operator const char *() const { return 0; }
    A operator,(int);
    bool operator<(const A &) const;
    bool operator>>(int);
};
