template </* the type, > or not */ typename T>
struct Box { T a; };
