@interface NSString (Trim) <Trimming>
@end
