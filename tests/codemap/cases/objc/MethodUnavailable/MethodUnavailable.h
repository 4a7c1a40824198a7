@interface A : NSObject
- (instancetype)init __attribute__((unavailable("use { instead")));
- (void)after;
@end
