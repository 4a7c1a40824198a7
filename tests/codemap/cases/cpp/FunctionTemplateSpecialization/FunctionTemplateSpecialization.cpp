template <> int parse<int>(const char *text) { return 1; }
template <> std::vector<int> parse<std::vector<int>>(const char *text) { return {}; }
