long double operator""_deg(long double a) { return a; }
Tide operator "" _tide(unsigned long long a) { return {}; }
