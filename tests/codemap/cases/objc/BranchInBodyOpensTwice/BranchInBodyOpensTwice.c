void run(void) {
#if WIDE
    if (a) {
#else
    if (b) {
#endif
        stop();
    }
}
int after;
