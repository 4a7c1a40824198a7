int A::size() const { return 1; }
int A::size() volatile noexcept { return 1; }
