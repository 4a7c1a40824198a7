struct Outer {
    class Inner {
    private:
        int a;
    };
    int b;
};
