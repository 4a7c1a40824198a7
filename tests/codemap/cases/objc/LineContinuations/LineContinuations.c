int runner;
#define LONG \
    1
int after;
