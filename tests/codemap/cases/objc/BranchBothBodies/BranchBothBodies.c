#if WIDE
int size(void) { return 2; }
#else
int size(void) { return 1; }
#endif
int after;
