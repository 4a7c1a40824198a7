void run() noexcept(noexcept(f())) {}
void old() throw(std::exception) {}
