struct A {
    [[maybe_unused]] int a;
    alignas(16) char b[16];
    int c [[deprecated]];
};
