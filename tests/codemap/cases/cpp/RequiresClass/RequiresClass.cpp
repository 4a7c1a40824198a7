template <typename T> requires Number<T>
class Box { T a; };
