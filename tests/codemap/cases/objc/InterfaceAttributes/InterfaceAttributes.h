__attribute__((objc_subclassing_restricted))
@interface Tide : NSObject
@end
NS_CLASS_AVAILABLE_IOS(7_0) @interface Ebb : NSObject
@end
