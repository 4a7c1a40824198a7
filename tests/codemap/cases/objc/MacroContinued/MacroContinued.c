#define LOG(text) \
    do { \
        print(text); \
    } while (0)
int after;
