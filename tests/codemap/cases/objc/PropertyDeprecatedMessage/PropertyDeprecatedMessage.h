@interface A : NSObject
@property (nonatomic) dispatch_queue_t queue __deprecated_msg("Use { another");
@property int depth __deprecated;
- (void)store:(int)a __deprecated;
@end
