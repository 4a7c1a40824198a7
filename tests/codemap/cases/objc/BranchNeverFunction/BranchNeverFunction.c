#if 0
void never(void) {
#endif
int after;
