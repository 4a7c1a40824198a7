enum tide kind(void) { return 0; }
union value *first(void) { return 0; }
