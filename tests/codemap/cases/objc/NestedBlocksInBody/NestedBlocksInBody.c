void run(void) { { { int a; } } { int b; } }
int after;
