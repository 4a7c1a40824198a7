struct A {
    int (*(*table)[3])(int);
    int (&reference)[2];
};
