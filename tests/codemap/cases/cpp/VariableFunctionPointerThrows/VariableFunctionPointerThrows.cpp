void (*one)() throw(int) = &f<0>;
void (*two)() noexcept = &g;
int after = 1;
