const char *a = FOOR"(", *b;
int after;
