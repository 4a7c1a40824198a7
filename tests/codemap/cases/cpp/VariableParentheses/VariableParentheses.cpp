const std::string name("tide");
Tide tide(1, 2);
int after;
