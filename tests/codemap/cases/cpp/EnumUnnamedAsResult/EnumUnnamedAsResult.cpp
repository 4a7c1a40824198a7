enum { ebb } Tide::next() { return ebb; }
enum { flow } tide() { return flow; }
enum { calm } sea;
int after;
