auto sorted = sort(list, [](int a, int b) { return a < b; }, 3);
struct A { std::function<int()> f = [this] { return 1; }; int g; };
