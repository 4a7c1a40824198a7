class Tide {
    friend void pull(Tide &) {}
    friend inline int height(const Tide &tide) { return 1; }
    template <typename T> friend void push(T &) {}
    friend class Moon;
    void rise() {}
};
