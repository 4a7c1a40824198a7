Task<int> run() { co_await rise(); co_return 1; }
Generator<std::pair<int, int>> list() { co_yield {1, 2}; }
