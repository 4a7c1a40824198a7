auto rise = [](int a) { int local = a; return local; };
static const auto value = [] { return 3; }();
int after;
