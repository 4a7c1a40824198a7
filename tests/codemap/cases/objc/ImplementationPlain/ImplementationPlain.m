@implementation Tide
- (void)rise { }
@end
