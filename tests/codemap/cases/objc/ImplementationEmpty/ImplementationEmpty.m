@implementation A
@end
@implementation B @end
