#define BEGIN {
#define END }
int after;
