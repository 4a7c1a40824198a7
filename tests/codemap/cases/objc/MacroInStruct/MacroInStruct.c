struct all {
    int a;
#define ALL_A a
    int b;
};
