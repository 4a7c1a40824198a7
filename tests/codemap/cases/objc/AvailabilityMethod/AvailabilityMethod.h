@interface Harbour : NSObject
- (void)open API_AVAILABLE(ios(13.0));
- (void)closeWith:(int)a NS_SWIFT_NAME(close(_:));
@end
