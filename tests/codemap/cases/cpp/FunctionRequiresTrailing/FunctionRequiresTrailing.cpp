template <typename T>
T run(T a) requires Number<T> && (sizeof(T) > 1) {
    return a;
}
int after;
