void run(struct point *p, class Tide &t, enum kind k) {}
struct point *find(struct point *p) { return p; }
