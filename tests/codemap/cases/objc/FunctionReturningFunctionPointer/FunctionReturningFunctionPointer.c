void (*signal(int sig, void (*func)(int)))(int) { return 0; }
