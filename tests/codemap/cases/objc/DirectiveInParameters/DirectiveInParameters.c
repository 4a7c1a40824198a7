void run(int a,
#ifdef WIDE
         long b
#else
         int b
#endif
) { }
int after;
