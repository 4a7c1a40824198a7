const std::vector<int> *A::list() { return nullptr; }
std::map<int, int>::iterator A::find(int a) { return {}; }
