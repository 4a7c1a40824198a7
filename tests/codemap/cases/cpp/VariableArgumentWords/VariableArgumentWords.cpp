constexpr A first(true);
A second(false), third(nullptr);
std::unique_ptr<A> fourth(new A);
template <typename T> A B<T>::fifth(sizeof(T));
A prototype(trueType);
Command sixth(QChar('c')), seventh({});
Command another(QChar c);
