#ifdef WIDE
int run(long a) {
#else
int run(int a) {
#endif
    return 1;
}
int after;
