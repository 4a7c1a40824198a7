struct wire PACKED(1) { char a; };
typedef struct { char b; } PACKED Frame;
