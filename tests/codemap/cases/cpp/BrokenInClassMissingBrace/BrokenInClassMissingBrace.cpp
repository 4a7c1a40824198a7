class A {
public:
    void rise() {
        if (high) {
            run();
    }

    void ebb() { }
    int tide() const {
        return 1;
    }
};

int after;
