typedef struct Point { int x; } Point;
