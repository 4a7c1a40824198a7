typedef struct { int x; } Point;
