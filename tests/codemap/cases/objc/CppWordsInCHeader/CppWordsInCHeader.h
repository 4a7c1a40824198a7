struct thing { int class; void *private; int template; };
int delete(int this, int new);
