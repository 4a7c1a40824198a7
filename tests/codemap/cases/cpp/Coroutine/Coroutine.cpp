Task<int> run() { co_return 3; }
int after;
