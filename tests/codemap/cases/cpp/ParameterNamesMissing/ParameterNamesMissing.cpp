void run(int, const char *, void (*)(int), int = 3) {}
