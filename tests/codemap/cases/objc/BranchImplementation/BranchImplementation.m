@implementation A
#if DEBUG
- (void)debug { }
#else
- (void)release { }
#endif
- (void)both { }
@end
