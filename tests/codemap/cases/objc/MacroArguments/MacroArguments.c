#define JOIN(a, b) a##b
#define TEXT(a) #a "}"
int after;
