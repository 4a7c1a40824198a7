int a{1};
std::vector<int> list{1, 2, 3};
const Tide tide{.a = 1};
int after;
