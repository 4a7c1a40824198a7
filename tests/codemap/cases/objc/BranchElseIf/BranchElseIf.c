#if A
int a(void) {
#elif B
int b(void) {
#else
int c(void) {
#endif
    return 1;
}
int after;
