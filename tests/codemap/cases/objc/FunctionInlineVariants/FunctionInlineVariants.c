extern inline int a(void) { return 1; }
static __inline__ int b(void) { return 1; }
__forceinline int c(void) { return 1; }
