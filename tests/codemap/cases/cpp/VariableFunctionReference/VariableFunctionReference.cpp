void (&call)(int) = run;
int (*table[2])(int) = {one, two};
