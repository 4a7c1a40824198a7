__declspec(dllexport) int __stdcall entry(void) { return 1; }
