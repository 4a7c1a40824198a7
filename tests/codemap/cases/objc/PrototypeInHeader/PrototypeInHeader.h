int helper(int a);
extern void other(void);
const char *title(void);
