@implementation A
- move:a by:b { return a; }
- plain { return 0; }
@end
