void run(int a;
int after;
