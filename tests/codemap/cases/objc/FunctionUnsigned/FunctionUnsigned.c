unsigned a(void) { return 1; }
long long b(void) { return 1; }
signed char c(void) { return 1; }
