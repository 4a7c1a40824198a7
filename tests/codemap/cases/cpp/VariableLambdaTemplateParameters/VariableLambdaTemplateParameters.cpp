auto first = []<template <class> class T, class U>(T<U>, auto i) constexpr -> U { return i; };
auto second = [&]<typename T>(T a) { return a; }, third = 1;
Nothing<[]() { return 0; }()> fourth;
Nothing<[] { return 0; }> fifth;
int sixth = a[1] < b, seventh = c > d;
