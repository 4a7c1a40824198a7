struct A {
    auto begin() const -> int *;
    auto end() -> decltype(begin()) { return nullptr; }
};
