typedef struct point { int x; } Point;
