int a = 1 << 2, b = a >> 1;
bool c = a < b, d = a > b;
int after;
