auto &value = other;
auto *pointer = &value;
decltype(value) same = value;
