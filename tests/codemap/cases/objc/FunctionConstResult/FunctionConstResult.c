const struct point *origin(void) { return 0; }
