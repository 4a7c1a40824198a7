const char *a = "not closed;
int lost;
int shown;
