template <typename T> concept Small = sizeof(T) < 8;
template <typename T> concept Has = requires(T a) { { a.x() } -> Same<int>; };
int after;
