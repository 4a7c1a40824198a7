NS_ASSUME_NONNULL_BEGIN
@interface Tide : NSObject
@end
NS_ASSUME_NONNULL_END
int after;
