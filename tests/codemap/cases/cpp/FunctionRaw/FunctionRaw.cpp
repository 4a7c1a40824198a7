std::string text() { return R"x( } )" { )x"; }
int after;
