@implementation A
- (void)run:(const char *const)a list:(int[3])b call:(void (*)(int))c { }
@end
