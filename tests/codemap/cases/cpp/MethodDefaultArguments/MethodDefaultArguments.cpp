struct A {
    void run(int a = (1 + 2), char b = '}', const char *c = ")");
    int after;
};
