int before(void) { return 1; }
void broken(void)
{
    if (a) {
        b();
}
int after(void) { return 2; }
int last;
