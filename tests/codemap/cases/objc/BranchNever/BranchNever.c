#if 0
void unused(void) {
    {
#endif
int after;
