#pragma once
namespace sea {
void helper(int a);
std::string name();
inline int three() { return 3; }
}
