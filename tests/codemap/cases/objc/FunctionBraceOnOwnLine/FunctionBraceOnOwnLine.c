int
run
(int a)
{
    return a;
}
int after;
