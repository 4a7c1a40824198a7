@implementation A
- (void)if:(int)a for:(int)b { }
+ (int)default { return 1; }
@end
