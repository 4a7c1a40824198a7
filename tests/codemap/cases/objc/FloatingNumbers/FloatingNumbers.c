double a = 1.5e-3, b = .5, c = 0x1.8p+3, d = 1.;
int after;
