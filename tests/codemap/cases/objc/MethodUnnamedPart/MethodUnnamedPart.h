@interface A
- (void)move:(int)a :(int)b;
@end
