const int a = 1;
int const b = 2;
static const char *const names[] = {"a", "b"};
