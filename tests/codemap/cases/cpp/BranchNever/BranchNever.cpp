#if 0
class Never {
#endif
class Ever { int a; };
