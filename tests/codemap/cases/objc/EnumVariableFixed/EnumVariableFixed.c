enum Colour : uint64_t shown = 1;
