struct __attribute__((packed)) tide { int a; };
struct moon { int b; } __attribute__((aligned(8)));
