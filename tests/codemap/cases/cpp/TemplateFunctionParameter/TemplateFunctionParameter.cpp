template <void (*F)(int), typename R = std::function<void()>> struct Caller { R r; };
