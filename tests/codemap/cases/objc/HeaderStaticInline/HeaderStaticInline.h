static inline int twice(int a) { return 2 * a; }
NS_INLINE BOOL isHigh(int a) { return a > 1; }
CG_EXTERN int thrice(int a);
