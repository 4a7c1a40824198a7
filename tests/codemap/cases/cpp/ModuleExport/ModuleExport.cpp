export module sea;
import std;
export int depth() { return 1; }
