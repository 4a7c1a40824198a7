@implementation A
- (void)run { const char *a = @encode(struct { int b; }); SEL c = @selector(run:with:); }
- (void)after { }
@end
