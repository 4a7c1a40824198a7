#define RUN(a) do { if (a) { b(); } } while (0)
int after;
