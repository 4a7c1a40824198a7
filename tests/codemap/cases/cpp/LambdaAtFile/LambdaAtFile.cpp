auto run = [](int a) -> int { return a; };
auto immediate = [] { return 1; }();
int after;
