#ifdef WIDE
class Tide : public Wide {
#else
class Tide {
#endif
public:
    int a;
};
int after;
