class Tide {
#ifdef WIDE
    int wide;
    void run() {
#else
    int slim;
    void run(int a) {
#endif
    }
    int last;
};
