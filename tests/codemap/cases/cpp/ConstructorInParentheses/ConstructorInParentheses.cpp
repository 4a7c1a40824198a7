struct Tide {
    (Tide)(float);
    Tide (next)(int);
};
(Tide::Tide)(float) {}
template <typename T> struct Sea {
    (Sea)(double);
};
template <typename T> (Sea<T>::Sea)(double) {}
int after;
