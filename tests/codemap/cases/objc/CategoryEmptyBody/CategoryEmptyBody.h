@interface NSString (Tide)
@end
