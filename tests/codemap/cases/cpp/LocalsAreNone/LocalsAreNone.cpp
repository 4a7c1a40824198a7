int run() {
    int a = 1;
    for (int b = 0; b < 3; ++b) { int c = b; }
    return a;
}
