struct All {
    int a = 1, b{2}, *c = nullptr;
    std::vector<std::pair<int, int>> pairs;
    std::function<void(int, char)> call;
    static const int limit = 3;
    static inline std::map<int, int> table = {{1, 2}};
    mutable int m;
    int bits : 3 = 1;
    const char *names[2];
    int (*pointer)(int);
    int (All::*member)(int);
};
