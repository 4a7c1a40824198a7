char *name(void) { return 0; }
