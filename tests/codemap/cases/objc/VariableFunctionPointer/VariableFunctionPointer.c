int (*compare)(const void *, const void *) = 0;
