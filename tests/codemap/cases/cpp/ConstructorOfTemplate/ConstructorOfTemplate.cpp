template <typename T>
Box<T>::Box(T value) : value_(value) {}
template <typename T>
Box<T>::~Box() {}
