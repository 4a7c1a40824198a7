struct A { inline static const std::vector<int> all{1, 2}; static constexpr int n = 3; };
