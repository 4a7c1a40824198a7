struct point origin = { .x = 1, .y = { 2 } };
