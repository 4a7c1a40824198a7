/* first */ #define ONE 1
  /* over
     lines */ # define TWO 2
#define /* named */ THREE 3
int f(void) {
    /* if */ #if A
    {
    /* else */ #else
    {
    #endif
    }
}
int g(void) { return 0; }
