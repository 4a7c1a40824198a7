int ::sea::run(int a) { return a; }
int after;
