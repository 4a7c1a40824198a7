@interface NSString (Trim)
- (NSString *)trimmed;
@end
