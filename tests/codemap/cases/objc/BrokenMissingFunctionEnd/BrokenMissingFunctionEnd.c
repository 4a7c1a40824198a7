void broken(void)
{
    b();

int after(void)
{
    return 2;
}
