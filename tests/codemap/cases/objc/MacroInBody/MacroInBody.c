void run(void) {
#define LOCAL 1
#undef LOCAL
}
