struct A {
    std::array<std::pair<int, char>, (1 << 2)> table;
    std::unique_ptr<int[]> list;
    decltype(run()) result;
};
