auto call = ^(int a) { return a; };
void run() { dispatch(^{ [self done:{1, 2}]; }); }
int after;
