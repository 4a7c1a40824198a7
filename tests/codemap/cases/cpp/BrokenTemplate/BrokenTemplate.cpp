template <typename T;
int after;
