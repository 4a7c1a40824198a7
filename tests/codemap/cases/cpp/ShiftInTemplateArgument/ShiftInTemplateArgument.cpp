std::bitset<(1 << 3)> bits;
Array<int, (4 > 3)> wide;
int after;
