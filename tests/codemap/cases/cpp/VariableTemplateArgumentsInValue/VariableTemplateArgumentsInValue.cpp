template <typename... Args>
struct Trailing {
    static constexpr int value = count<0, Args...>::value;
    static constexpr int other = index<First, Rest...>::value + same<A, B, C>::value, last = 3;
};

constexpr bool isShared = is_shared<T, P>::value;
int less = a < b, more = c > d;
auto made = std::tuple<int, char*, std::map<int, long>>(1, nullptr, {}), after = 2;
int shifted = a < (b, c), unclosed = a < d;
int behind = 1;
