typedef std::map<std::string, std::vector<int>> Table;
