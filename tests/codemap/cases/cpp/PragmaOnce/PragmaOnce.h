#pragma once
#include <vector>
struct A;
int run();
