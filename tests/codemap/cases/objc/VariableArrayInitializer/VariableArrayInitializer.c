static const char *names[] = {
    "one { brace",
    "two",
};
int after;
