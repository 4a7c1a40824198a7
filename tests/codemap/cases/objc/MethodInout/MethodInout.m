@implementation A
- (void)run:(inout int *)a by:(bycopy id)b out:(out id *)c { }
- (oneway void)rise { }
@end
