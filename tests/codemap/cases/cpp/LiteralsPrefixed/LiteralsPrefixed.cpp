auto a = u8"}", b = L"{", c = U'\'';
int after;
