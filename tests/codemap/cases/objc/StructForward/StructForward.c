struct point;
union value;
enum kind;
