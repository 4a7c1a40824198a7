void run() {
#if A
    if (a) {
        b();
    }
#else
    {
        c();
    }
#endif
}
int after;
