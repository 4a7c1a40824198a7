template class Box<int>;
extern template class Box<char>;
template void run<int>(int);
int after;
