int table[] = { [0] = 1, [1 ... 3] = 2 };
struct tide first = { .height = { .low = 1 } }, second;
