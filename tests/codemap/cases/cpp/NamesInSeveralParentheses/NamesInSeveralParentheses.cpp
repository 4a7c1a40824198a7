int ((tide)) = 1;
decltype(auto) (((ebb))) = 2;
int ((flow))(int value) { return value; }
template <typename T> T (Sea<T>::deep)(int) { return 0; }
int after;
