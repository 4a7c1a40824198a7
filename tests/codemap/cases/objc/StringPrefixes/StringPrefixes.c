const wchar_t *a = L"{";
const char *b = u8"}";
int shown;
