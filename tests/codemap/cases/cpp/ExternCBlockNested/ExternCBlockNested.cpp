namespace sea {
extern "C" {
void run(void) {}
}
void rise() {}
}
