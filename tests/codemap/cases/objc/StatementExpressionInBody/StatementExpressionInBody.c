int run(void) { return ({ int a = 1; a; }); }
int after;
