#if __cplusplus > 201103L
template <typename T> constexpr int sizeOf = sizeof(T);
#endif
int after;
