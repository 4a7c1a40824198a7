void sort(base, cmp)
    char *base;
    int (*cmp)();
{
}
int after;
