static inline unsigned long long mix(unsigned a) { return a; }
