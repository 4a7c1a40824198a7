const char *a = "one;
int after;
