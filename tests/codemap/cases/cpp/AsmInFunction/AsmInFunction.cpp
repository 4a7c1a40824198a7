void run() {
    asm volatile("nop { " : : "r"(1));
}
int after;
