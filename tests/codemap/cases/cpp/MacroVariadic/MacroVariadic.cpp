#define LOG(format, ...) printf(format, ##__VA_ARGS__)
int after;
