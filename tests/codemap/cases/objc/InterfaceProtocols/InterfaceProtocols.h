@interface Tide : NSObject <NSCopying, NSCoding>
@end
