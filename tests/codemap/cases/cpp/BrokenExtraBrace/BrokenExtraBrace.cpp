namespace sea {
void run() { } }
}
int after() { return 1; }
