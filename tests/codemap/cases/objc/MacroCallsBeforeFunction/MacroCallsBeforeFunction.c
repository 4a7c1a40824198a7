FUNCS(1)
FUNCS(2)
static int
last(int a)
{
    return a;
}
