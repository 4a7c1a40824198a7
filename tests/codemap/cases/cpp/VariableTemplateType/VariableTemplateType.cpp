std::map<std::string, std::vector<int>> table = f<int, char>(1);
Box<(3 > 2)> box;
