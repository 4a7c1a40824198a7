@implementation A
- (void)rise; { }
- (void)ebb { }
@end
