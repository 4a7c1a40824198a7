void helper(int a);
std::string name();
void helper(int a) {}
