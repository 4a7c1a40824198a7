@interface A : NSObject
+ (void)rise;
- (void)ebb;
+ (instancetype)new NS_UNAVAILABLE;
@end
