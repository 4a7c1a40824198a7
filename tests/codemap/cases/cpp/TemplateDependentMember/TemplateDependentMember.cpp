template <typename T>
typename Box<T>::iterator Box<T>::begin() { return {}; }
