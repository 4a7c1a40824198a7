typedef int (*compare)(const void *, const void *);
