struct A {
    template <typename T> void add(T a) { run(a); }
    template <typename T, typename U> U map(T) const;
};
