class Tide : public Water, private virtual Moon::Pull, Base<int, char> {};
