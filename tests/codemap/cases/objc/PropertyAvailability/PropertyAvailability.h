@interface A : NSObject
@property int depth API_AVAILABLE(ios(13.0));
@property int height __attribute__((deprecated("use depth")));
@end
