struct Value {
    union { int i; float f; };
    struct { int x; } point;
};
