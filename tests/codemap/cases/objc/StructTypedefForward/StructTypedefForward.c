typedef struct point Point;
