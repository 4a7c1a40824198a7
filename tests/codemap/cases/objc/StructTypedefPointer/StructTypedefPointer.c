typedef struct { int x; } *PointRef;
