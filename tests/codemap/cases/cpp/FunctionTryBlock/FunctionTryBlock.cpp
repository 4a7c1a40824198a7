int run() try {
    return 1;
} catch (const A &a) {
    return 2;
} catch (...) {
    return 3;
}
int after;
