@protocol Observing <NSObject, NSCopying>
@required
- (void)changed;
@optional
- (void)ended;
@property (readonly) int count;
@end
