@implementation NSString (Trim)
- (NSString *)trimmed { return self; }
@end
