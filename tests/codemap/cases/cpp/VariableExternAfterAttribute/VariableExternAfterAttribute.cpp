alignas(8) extern unsigned char buffer[8];
template <typename T> extern const int redeclared;
alignas(8) unsigned char own[8];
