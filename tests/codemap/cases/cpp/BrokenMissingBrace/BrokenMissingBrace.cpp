void broken() {
    if (a) {
        b();
}

int after() {
    return 2;
}
