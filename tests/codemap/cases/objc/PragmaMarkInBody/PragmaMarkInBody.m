void run(void) {
#pragma mark Inside
#warning unfinished {
}
int after;
