class Tide {
    friend class Moon;
    friend void pull(Tide &);
    friend bool operator==(const Tide &, const Tide &);
    int a;
};
