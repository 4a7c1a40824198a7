@implementation A
- (int)run {
    int a = 1
        - 2
        + 3;
    return a;
}
- (void)after { }
@end
