typedef struct { int x; } Point, *PointRef;
