std::map<int, std::map<int, std::vector<int>>> deep;
int after;
