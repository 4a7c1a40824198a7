void run(void)
{
    if (1) { }
}
