extern "C" {
int helper(void) { return 1; }
struct point { int x; };
}
extern "C" int single(void) { return 2; }
