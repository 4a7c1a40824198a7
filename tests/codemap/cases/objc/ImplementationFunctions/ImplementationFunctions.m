@implementation Tide
static int helper(int a) { return a; }
- (void)rise { helper(1); }
static NSString *const kName = @"a";
@end
