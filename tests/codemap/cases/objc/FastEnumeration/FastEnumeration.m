@implementation A
- (void)run { for (NSString *a in @[@"{", @"}"]) { b(a); } }
- (void)after { }
@end
