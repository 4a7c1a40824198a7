const char *a = R"(never closed;
int after;
