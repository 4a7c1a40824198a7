int Tide::count = 3;
const std::string Tide::kName("a");
