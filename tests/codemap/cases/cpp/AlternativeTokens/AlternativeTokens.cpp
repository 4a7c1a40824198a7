bool a = not b and c or d;
int after;
