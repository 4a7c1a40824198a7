#ifdef NAMED
namespace sea {
#endif
int a;
#ifdef NAMED
}
#endif
int b;
