extern int __sum (int __a, unsigned long __b);
static int __init begin(void) { return 0; }
struct tide { int __low, *__high; };
typedef signed __int8 small;
