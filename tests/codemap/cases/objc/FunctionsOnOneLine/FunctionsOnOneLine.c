int a(void) { return 1; } int b(void) { return 2; } int c;
