class A {
public:
    void rise() {
        if (a) {
    }
private:
    int a;
};
class B {
public:
    int b;
};
