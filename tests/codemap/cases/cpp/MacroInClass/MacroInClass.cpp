class A {
#define LIMIT 3
    int a[LIMIT];
};
