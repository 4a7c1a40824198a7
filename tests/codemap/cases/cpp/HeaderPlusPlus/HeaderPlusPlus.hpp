#pragma once

namespace sea {

extern int depth;
void registerAll();
std::string nameOf(int tide) noexcept;

class Tide;

struct Wave {
    void rise();
};

inline int height() { return 1; }

} // namespace sea
