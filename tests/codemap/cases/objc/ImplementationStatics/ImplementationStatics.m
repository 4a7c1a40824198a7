@implementation A
static int count = 0;
static void helper(void) { count++; }
- (void)run { helper(); }
@end
