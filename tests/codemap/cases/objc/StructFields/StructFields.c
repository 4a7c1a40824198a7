struct all {
    int a, *b, c[3];
    unsigned d : 3, e : 5, : 0;
    void (*call)(int a, int b);
    struct other *next;
    const char *name;
};
