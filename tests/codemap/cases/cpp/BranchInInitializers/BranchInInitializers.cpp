A::A()
    : a(1)
#ifdef WIDE
    , b(2)
#endif
{
    run();
}
int after;
