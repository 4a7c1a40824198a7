A A::operator+(const A &) const { return *this; }
bool operator==(const A &a, const A &b) { return true; }
std::ostream &operator<<(std::ostream &out, const A &a) { return out; }
A::operator bool() const { return true; }
