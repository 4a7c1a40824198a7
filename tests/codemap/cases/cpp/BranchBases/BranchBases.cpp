class Tide
#ifdef WIDE
    : public Wide
#endif
{
    int a;
};
int after;
