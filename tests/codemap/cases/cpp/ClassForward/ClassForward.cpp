class Tide;
struct Ebb;
enum class Kind : int;
template <typename T> class Box;
