enum Kind {
    one,
    two

void run() {
    rise();
}
int after;
