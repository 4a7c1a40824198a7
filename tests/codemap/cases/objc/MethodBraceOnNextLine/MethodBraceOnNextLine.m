@implementation A
- (void)run
{
}

- (void) spaced : (int) a with : (int) b
{
}
@end
