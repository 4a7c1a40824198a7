@interface A
- (void)move:(int)a by:(NSString *)b;
@end
