const char *a = "/* no comment";
const char *b = "// none";
int shown;
