int a = 1'000'000, b = 0x'F;
void run() { int c = 1'000; char d = '{'; int e = 0b1'0; }
int after;
