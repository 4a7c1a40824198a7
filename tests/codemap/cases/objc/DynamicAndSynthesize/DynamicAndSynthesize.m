@implementation A
@synthesize height = _height, depth;
@dynamic moon;
- (void)run { }
@end
