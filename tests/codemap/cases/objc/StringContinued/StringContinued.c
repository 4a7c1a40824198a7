const char *a = "one \
{ two";
int shown;
