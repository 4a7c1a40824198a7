void stop(void) __attribute__((noreturn));
__attribute__((deprecated("use that"))) int old(void);
int fresh(void) API_AVAILABLE(ios(9.0), macos(10.11));
