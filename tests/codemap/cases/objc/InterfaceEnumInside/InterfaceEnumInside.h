@interface A : NSObject
typedef NS_ENUM(NSInteger, Kind) { KindOne };
@property Kind kind;
@end
