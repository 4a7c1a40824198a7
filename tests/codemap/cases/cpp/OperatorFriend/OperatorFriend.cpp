struct A {
    friend bool operator==(const A &a, const A &b) { return true; }
    friend std::ostream &operator<<(std::ostream &, const A &);
};
