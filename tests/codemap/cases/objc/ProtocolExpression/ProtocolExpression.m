void run(void) {
    id p =
@protocol(NSCopying);
}
int after;
