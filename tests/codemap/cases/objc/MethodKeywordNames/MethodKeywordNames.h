@interface A
- (void)class:(int)for if:(int)while;
- (void)default;
@end
