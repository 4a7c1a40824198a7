template <class T = std::pair<int, int>, bool B = (1 > 0)> struct Box { T a; };
