TIDE_API std::string name() TIDE_NOEXCEPT { return ""; }
static TIDE_INLINE int size() { return 1; }
