@implementation A : NSObject
- (void)run { }
@end
