struct tide {
    union { int a; float b; };
    struct { int c; } inner;
};
