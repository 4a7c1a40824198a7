[[nodiscard]] [[gnu::pure]] int pure() { return 1; }
int unused([[maybe_unused]] int a) { return 1; }
