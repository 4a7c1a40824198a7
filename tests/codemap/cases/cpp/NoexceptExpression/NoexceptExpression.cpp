void run() noexcept(noexcept(rise()) && true) {}
int after;
