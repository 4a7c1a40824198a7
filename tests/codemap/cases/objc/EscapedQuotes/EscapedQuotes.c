const char *a = "\\", *b = "\"{", *c = "\\\"}";
int after;
