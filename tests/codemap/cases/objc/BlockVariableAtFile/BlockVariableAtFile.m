static void (^handler)(int) = ^(int a) { run(a); };
int after;
