template <typename T> concept Small = sizeof(T) < 3 && requires(T a) { a.run(); };
int after;
