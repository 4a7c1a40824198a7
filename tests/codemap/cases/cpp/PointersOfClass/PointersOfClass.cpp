int (*Sea::tide)(int) = nullptr;
template <typename T> int (*Sea<T>::ebb)() = [] { return 5; };
int (Sea::*flow)(int) = &Sea::deep;
void (*plain)(Sea<int> sea);
int after;
