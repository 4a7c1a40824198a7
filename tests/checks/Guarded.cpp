// Something for each kind of hardening to guard: an array, a copy, a large frame, an index.
// planted-faults.sh compiles it.
#include <cstdio>
#include <cstring>
#include <vector>

static void __attribute__((noinline)) fill(char* large, const char* text) {
    std::strcpy(large, text);
}

int main(int argc, char** argv) {
    char text[16];
    std::strcpy(text, argv[0]);
    char large[100'000];
    fill(large, text);
    const std::vector<int> numbers(static_cast<std::size_t>(argc));
    return std::puts(large) + numbers[static_cast<std::size_t>(large[0])];
}
