@interface Issue : NSObject
@property struct { _Bool x0; } failureBreakPointCalled;
@property (readonly) struct Version { int major; int minor; } version;
@property (copy) NSDate *timestamp;
@end
