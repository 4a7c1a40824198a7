struct A {
    static constexpr int kLimit = 3;
    static constexpr std::array<int, 2> kPair{1, 2};
    inline static int count = 0;
};
