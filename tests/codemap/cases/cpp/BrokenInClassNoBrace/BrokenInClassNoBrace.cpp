namespace sea {

class A {
    void rise() {
        run();

    void ebb() {
        run();
    }
};

class B {
    int a;
};

}
int after;
