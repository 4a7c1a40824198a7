class A {
#ifdef WIDE
    void wide();
#else
    void narrow();
#endif
    void both();
};
