using Height = double;
using Heights = std::vector<Height>;
