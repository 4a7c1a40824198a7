int a = 0xFF'FF, b = 1'000'000;
double c = 1.5e-3, d = 0x1.8p+3;
