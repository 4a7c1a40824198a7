union Value {
    int whole;
    double real;
    Value() {}
    ~Value() {}
};
