int &reference = value;
int &&moved = std::move(value);
