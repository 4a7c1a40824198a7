void sort(int (*compare)(const void *, const void *), void (*swap)(void)) { }
