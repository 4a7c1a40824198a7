int class = 1, new, private;
struct template { int this; int operator; };
int namespace_of(int public) { return public; }
