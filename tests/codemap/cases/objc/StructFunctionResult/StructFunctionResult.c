struct point make(int x) { struct point p = { x }; return p; }
