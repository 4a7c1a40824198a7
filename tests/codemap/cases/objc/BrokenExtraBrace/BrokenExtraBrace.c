void run(void) { } }
int after(void) { return 1; }
