@implementation A
- (void)rise { }

@implementation B
- (void)ebb { }
@end
