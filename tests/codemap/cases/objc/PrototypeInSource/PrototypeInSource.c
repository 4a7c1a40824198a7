int helper(int a);
static void other(void);
int helper(int a) { return a; }
