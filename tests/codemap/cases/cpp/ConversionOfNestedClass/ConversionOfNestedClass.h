template <typename T>
inline Array<T>::Element::operator const local<T> () const { return {}; }
