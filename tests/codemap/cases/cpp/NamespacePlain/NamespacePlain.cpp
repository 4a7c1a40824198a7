namespace sea {
int depth;
void rise() {}
}
