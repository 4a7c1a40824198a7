template <int N, bool B = (N > 3)> struct Wide { int a; };
int after;
