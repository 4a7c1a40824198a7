enum kind {
    one,
#if WIDE
    two,
    three
#else
    four
#endif
};
