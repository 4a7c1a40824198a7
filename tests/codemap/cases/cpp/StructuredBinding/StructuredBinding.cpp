auto [a, b] = pair();
int after;
