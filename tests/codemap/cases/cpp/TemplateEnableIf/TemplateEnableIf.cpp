template <typename T, std::enable_if_t<(sizeof(T) > 4), int> = 0> void run(T) {}
