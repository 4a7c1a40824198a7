void run(void) {
#ifdef A
    if (a) {
#endif
        b();
#ifdef A
    }
#endif
}
int after;
