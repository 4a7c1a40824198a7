template <> struct std::hash<Tide> { size_t operator()(const Tide &) const { return 1; } };
template <typename T> class Box<T *> : Base<T> { T *a; };
