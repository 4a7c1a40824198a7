class Outer {
    class Inner {
        int a;

    int b;
};
int after;
