static int
run(a, b)
int a;
char *b;
{
    return a;
}
int after;
