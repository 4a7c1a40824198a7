int run(struct tide { int a; } b) { return b.a; }
int after;
