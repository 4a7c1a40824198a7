auto size() -> std::size_t { return 1; }
auto pair() -> std::pair<int, int> { return {1, 2}; }
