static const int *a, b = 2, c[3] = {1, 2, 3}, (*d)(void);
