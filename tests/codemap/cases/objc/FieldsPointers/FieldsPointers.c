struct tide {
    struct tide *next, **previous;
    const char *name;
    unsigned char bytes[4][2];
};
