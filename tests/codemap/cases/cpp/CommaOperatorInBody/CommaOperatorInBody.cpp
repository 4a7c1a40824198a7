void run() { for (int a = 0, b = 1; a < b; ++a, --b) { } }
int after;
