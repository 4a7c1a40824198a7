#if WIDE
void run(int a) {
#else
void run(void) {
#endif
    stop();
}
int after;
