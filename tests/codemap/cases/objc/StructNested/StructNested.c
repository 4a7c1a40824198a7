struct outer {
    struct inner { int a; } one;
    union { int i; float f; };
    struct { int q; } two;
    enum mode { on, off } mode;
};
