struct A {
    struct { int x, y; } place;
    union { int a; float b; };
};
