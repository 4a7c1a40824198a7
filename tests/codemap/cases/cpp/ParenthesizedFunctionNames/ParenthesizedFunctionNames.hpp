int (first)(float);
int (second)(float value) { return 1; }
namespace Sea {
bool (isDeep)() { return true; }
}
template <typename T> int (third)(T value) { return 1; }
class Harbour {
    int (depth)(float) const;
    static Harbour* (make)(int);
    Harbour& (nearest)();
    int (*pointer)(float);
};
