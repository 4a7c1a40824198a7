__attribute__((unused, format(printf, 1, 2)))
static void say(const char *format, ...) { }
