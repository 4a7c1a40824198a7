extern int a, *b;
extern const char *const names[];
