template <typename T> using List = std::vector<T, Alloc<T>>;
