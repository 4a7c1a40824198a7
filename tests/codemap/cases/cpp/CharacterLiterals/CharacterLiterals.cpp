char a = '{', b = '\'', c = '"';
wchar_t d = L'}';
char8_t e = u8'{';
void run() { if (a == '}' || b == '\\') { } }
int after;
