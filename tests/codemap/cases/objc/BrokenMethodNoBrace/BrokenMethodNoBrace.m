@implementation A
- (void)rise {
    if (a) {
        b();

- (void)ebb {
    c();
}

- (void)flow { }
@end
int after;
