extern "C" int run(void) { return 1; }
extern "C" int declared(void);
