void quit(void) __attribute__((noreturn));
__attribute__((constructor)) static void begin(void) { run(); }
