auto run = []<typename T>(T a) mutable noexcept -> T { return a; };
int after;
