#ifdef WIDE
typedef long height;
#else
typedef int height;
#endif
