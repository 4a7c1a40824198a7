class Tide {
    Tide() : a(1), b{2}, Base<int>(3), c([] { return 1; }()) { run(); }
    Tide(int x) : a{x} {}
    int a, b, c;
};
