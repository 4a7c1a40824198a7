int run(int a;
int after;
