namespace sea {
inline int twice(int a) { return 2 * a; }
int thrice(int a);
extern int count;
}
