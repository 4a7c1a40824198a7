class A {
    enum { kSize = 3 };
    int a[kSize];
};
