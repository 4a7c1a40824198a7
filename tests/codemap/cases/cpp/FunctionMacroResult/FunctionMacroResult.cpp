EXPORT(int) run(void) { return 1; }
API std::string rise() { return ""; }
