@implementation A
- (void)first:(int)a // the first: one
       second:(int)b /* the second: two */ {
}
@end
