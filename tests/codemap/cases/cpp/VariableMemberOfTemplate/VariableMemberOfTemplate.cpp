template <typename T> int Box<T>::count = 0;
int A::total = 3;
