void (*handlers[])(int) = { a, b };
int after;
