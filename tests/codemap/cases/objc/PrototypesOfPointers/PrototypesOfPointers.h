char *name(void);
void (*handler(int sig))(int);
const char *const *list(int);
