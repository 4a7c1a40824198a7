enum class Kind : int;
enum Plain : short;
int after;
