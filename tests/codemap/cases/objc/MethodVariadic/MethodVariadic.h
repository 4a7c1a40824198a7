@interface A
- (void)log:(NSString *)format, ... NS_FORMAT_FUNCTION(1,2);
@end
