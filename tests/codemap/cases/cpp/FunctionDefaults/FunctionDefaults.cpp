void run(int a = f(1, 2), std::vector<int> b = {1, 2}, int c = (3)) {}
