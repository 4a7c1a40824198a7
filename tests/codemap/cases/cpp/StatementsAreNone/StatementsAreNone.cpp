void run() {
    for (int i = 0; i < 3; ++i) { int a; }
    auto f = [&](int b) { struct C { int d; }; };
    switch (1) { case 1: break; default: ; }
}
int after;
