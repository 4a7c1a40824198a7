TIDE_NAMESPACE_BEGIN

class Sea;
struct Harbour;
class Tide {
    int height;
};

TIDE_NAMESPACE_END
