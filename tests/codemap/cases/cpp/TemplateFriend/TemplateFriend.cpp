template <typename T> class Box {
    template <typename U> friend class Box;
    T a;
};
