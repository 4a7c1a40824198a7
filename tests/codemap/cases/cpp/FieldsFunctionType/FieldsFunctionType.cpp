struct A {
    void (*call)(int a, void (*inner)(int));
    std::function<int(int)> function = [](int a) { return a; };
};
