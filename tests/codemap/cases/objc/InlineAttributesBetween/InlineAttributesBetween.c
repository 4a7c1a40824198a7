static __attribute__((noinline)) int __attribute__((cold)) run(void) { return 1; }
