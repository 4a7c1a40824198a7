class TIDE_API Sea;
template <typename T> class TIDE_API Tide;
enum class TIDE_API Level;
struct FILE file;
class Harbour harbour;
