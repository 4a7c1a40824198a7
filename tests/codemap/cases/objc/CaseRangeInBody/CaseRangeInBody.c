int run(int a) {
    switch (a) { case 1 ... 3: return 1; default: return 0; }
}
int after;
