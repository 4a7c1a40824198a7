@implementation A
- (void)rise {
    if (a) {
}
@end
@implementation B
- (void)ebb { }
@end
