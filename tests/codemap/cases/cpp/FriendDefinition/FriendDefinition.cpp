class Tide {
    friend bool operator==(const Tide &, const Tide &) { return true; }
    friend void pull(Tide &) {}
};
