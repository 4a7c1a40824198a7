const char *const names[] = {"a", "b"};
int *const volatile place;
