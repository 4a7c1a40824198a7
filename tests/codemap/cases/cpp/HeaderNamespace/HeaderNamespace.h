namespace sea {
class Tide;
template <typename T> class Box;
double height(const Tide &tide);
}
