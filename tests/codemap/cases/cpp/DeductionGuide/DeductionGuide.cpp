template <typename T> struct Box { Box(T); };
template <typename T> Box(T) -> Box<T>;
int after;
