char a = '?'; const char *b = "??>";
int after;
