std::string tide(u8"tide");
wchar_t ebb[](L"ebb");
wchar_t flow(L'f');
int after;
