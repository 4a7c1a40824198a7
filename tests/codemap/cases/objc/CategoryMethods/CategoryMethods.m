@implementation NSString (Tide)
+ (instancetype)tide { return nil; }
- (NSString *)high { return self; }
@end
