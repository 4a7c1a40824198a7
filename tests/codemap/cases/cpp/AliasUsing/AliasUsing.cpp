using Number = int;
using Call = void (*)(int);
using Map [[maybe_unused]] = std::map<int, int>;
