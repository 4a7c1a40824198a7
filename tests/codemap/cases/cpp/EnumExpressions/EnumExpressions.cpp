enum Flags {
    one = 1 << 0,
    two = (1 << 1) | one,
    three = sizeof(int[2]),
    four = f<1, 2>::value,
};
