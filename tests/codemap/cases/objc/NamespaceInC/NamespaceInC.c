#ifdef NAMESPACE
namespace NAMESPACE
{
#endif

static int tide(void) {
    return 1;
}
int namespace;

#ifdef NAMESPACE
}
#endif
