[[nodiscard]] int run() { return 1; }
[[noreturn, gnu::cold]] void quit() { throw 1; }
struct [[nodiscard]] A { int a; };
