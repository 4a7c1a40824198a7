count(n) int n; { return n; }
