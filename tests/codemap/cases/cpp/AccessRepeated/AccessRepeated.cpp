class A {
public:
    int a;
private:
    int b;
public:
    int c;
};
