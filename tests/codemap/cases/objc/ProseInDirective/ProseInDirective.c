#error Don't build { this
int shown;
