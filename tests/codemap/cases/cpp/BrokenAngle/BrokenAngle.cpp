std::vector<int list;
int after;
