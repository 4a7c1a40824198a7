A::A() try : a(1) {
    run();
} catch (...) {
    rise();
}
int after;
