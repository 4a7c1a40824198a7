template <typename T> bool operator<(const Box<T> &a, const Box<T> &b) { return false; }
