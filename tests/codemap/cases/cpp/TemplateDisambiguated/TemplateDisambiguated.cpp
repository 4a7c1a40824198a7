template <typename T>
template <typename U>
void Outer<T>::template Inner<U>::run() {}
