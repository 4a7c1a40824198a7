#define MAX(a, b) ((a) > (b) ? (a) : (b))
