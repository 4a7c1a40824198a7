#if A
#if B
int ab;
#else
int a;
#endif
#else
int none;
#endif
