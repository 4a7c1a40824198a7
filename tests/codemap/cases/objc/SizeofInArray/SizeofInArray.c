char buffer[sizeof(struct { int a; })];
int after;
