struct A {
    int grid[3][4];
    char name[sizeof(int) * 2];
};
