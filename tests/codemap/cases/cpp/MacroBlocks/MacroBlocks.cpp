BEGIN_SUITE(sea) {
    run();
}
int after;
