void run() {
    struct Local { void f() {} int a; };
    enum { hidden };
    auto g = [] { return 1; };
}
int after;
