@implementation A
- (int)value {
    int a = 3
- (2);
    return a;
}
- (void)after { }
@end
