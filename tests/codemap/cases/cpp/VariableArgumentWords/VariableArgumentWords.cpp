constexpr A first(true);
A second(false), third(nullptr);
std::unique_ptr<A> fourth(new A);
template <typename T> A B<T>::fifth(sizeof(T));
A prototype(trueType);
Command sixth(QChar('c')), seventh({});
Command another(QChar c);
const std::map<int, const char *> names(::thrift::Iterator(8, values), ::thrift::Iterator(-1));
std::set<int> more(std::begin("a"));
