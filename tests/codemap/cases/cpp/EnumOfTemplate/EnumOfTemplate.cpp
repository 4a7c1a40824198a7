template <typename T> struct A { enum class Kind : T { one, two }; Kind kind; };
