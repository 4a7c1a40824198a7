@interface A : NSObject
@property (class, readonly) A *shared;
@property (nonatomic, getter=isHigh, setter=setIsHigh:) BOOL high;
@property (nonatomic, copy, nullable) NSString *name;
@end
