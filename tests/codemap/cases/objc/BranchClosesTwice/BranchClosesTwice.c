void run(void) {
#if WIDE
    a(); }
#else
    b(); }
#endif
int after;
