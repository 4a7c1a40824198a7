int größe;
int 数(void) { return 1; }
