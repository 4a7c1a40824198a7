@interface Tide : NSObject
@end
