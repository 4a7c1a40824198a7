template <typename T>
template <typename U>
void Box<T>::add(U a) {}
