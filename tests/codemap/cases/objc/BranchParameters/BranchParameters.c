int run(int a,
#if WIDE
        long b)
#else
        int b)
#endif
{
    return 0;
}
int after;
