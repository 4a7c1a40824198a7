#if 0
void old(void) {
#else
void fresh(void) {
#endif
}
int after;
