template <typename T> T twice(T a) { return a + a; }
template <> int twice<int>(int a) { return a; }
