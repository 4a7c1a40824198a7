struct Nothing {
    operator decltype(nullptr)() const;
    operator decltype (make(1, (2)))*() { return nullptr; }
    int after;
};
inline Nothing::operator decltype(nullptr)() const { return nullptr; }
struct Open {
    operator decltype(;
    int last;
};
