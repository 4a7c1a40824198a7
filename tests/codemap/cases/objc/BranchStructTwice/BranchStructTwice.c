#if WIDE
struct wide {
#else
struct slim {
#endif
    int a;
};
int after;
