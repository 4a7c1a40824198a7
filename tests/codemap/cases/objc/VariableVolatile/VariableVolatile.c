volatile sig_atomic_t stopped = 0;
