class A {
    int a;
    void rise();

class B {
    int b;
};

int after() {
    return 1;
}
