class A { int a; } first{1}, *second = nullptr;
int after;
