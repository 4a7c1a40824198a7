static struct { int x, y; } origin = { 0, 0 };
