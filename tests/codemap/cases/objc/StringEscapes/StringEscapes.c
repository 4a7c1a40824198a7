const char *a = "\"{\\";
const char b = '\'', c = '{', d = '"';
int shown;
