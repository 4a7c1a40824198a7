class Outer {
    class Inner {
        struct Deep { int a; };
        int b;
    };
    int c;
};
