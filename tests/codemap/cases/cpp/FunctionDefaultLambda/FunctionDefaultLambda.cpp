void run(std::function<int()> f = [] { return 1; }) { f(); }
int after;
