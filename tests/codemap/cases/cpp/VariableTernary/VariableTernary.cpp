int a = b ? c : d, e = f;
int g = b<c ? 1 : 2;
