template <typename T> struct Trait<T *> { using type = T; };
template <> struct Trait<int> { static const int value = 1; };
