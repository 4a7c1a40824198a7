namespace sea {

void rise() {
    if (a) {
        run();
}

void ebb() {
    run();
}

}
int after;
