auto run() { return 1; }
decltype(auto) rise() { return run(); }
auto ebb(int a) -> std::vector<int> { return {a}; }
