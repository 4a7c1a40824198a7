#pragma mark
#pragma mark -
#pragma mark Life
@implementation A
#pragma mark - Moving
- (void)run { }
@end
