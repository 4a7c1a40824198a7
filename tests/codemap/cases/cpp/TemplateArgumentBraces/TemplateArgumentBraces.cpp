Z<D{2, true}> first;
Z<A, D{2}, B> second = {};
struct S {
    Z<D{1}> field;
    Z<D{1}> method(int a) { return {}; }
};
template <int N = A{1}.value> struct T {};
struct U : Z<D{1}> {
    int a;
};
bool less = a < b;
