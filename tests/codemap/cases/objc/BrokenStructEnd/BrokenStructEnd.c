struct tide {
    int a;

struct moon {
    int b;
};
int after;
