@interface A
- (void)rise;
@end
