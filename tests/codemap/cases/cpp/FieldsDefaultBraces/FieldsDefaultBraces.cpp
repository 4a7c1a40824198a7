struct A {
    std::string name{"{"};
    std::vector<int> list{1, 2};
    int after = 3;
};
