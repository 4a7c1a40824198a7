typedef struct __attribute__((packed)) { char a; } Small;
struct other { char b; } __attribute__((aligned(8)));
typedef struct { char c; } __attribute__((packed)) Third;
