#define QUOTE "a { \" b"
#define CHAR '{'
int after;
