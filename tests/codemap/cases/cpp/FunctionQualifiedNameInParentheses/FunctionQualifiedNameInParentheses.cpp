int (test::fileno)(FILE *stream) {
    return 0;
}

int (plain)(int) {
    return 1;
}

Sea (Sea::tide)(int) { return Sea(); }
