struct point { int x; } first, *second;
