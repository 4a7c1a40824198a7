static ALWAYS_INLINE(v4sf) VZERO() {
    return zero;
}

static inline ALWAYS_INLINE(v4sf) VMUL(v4sf a, v4sf b) {
    return a * b;
}

ALWAYS_INLINE(int) plain(void) {
    return 0;
}
