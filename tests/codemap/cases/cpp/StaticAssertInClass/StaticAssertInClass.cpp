struct A {
    static_assert(sizeof(int) == 4, "} wide");
    int a;
};
