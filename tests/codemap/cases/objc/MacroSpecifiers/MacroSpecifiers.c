EXPORT int run(void) { return 1; }
static ALWAYS_INLINE int rise(void) { return 1; }
