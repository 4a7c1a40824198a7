const wchar_t *a = L"{", *b = L"\"}";
int after;
