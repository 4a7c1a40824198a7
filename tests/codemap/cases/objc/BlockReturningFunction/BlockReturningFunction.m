void (^make(int a))(void) { return 0; }
