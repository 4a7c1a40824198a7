@implementation A
- (void)
    move: (int)a
      by: (int)b
{
}
@end
