static int
twice(int a)
{
    return 2 * a;
}
