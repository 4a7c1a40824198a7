template <typename T, int N = 3> class Box { T value[N]; };
