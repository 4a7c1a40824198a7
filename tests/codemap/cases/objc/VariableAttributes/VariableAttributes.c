static int a __attribute__((unused)) = 1;
int b __attribute__((section(".data"))), c;
