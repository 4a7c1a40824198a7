struct tide { int a; } first = { 1 }, *second;
