std::cout << "a { ";
int after;
