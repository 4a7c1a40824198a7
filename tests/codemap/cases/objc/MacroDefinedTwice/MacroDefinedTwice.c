#ifdef A
#define DEPTH 1
#else
#define DEPTH 2
#endif
