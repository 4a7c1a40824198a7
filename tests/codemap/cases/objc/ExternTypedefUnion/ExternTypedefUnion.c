extern struct point origin;
struct point origin = { 1 };
