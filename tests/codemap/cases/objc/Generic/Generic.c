#define kind(x) _Generic((x), int: 1, default: 0)
int value = _Generic(1, int: 2, default: 3);
