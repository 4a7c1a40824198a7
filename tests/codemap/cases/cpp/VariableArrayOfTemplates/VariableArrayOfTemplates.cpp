std::vector<int> lists[3], *pointer;
