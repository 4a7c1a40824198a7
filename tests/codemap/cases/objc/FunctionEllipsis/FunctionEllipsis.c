int say(const char *format, ...) { return 0; }
