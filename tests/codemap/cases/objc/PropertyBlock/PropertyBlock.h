@interface A
@property (copy) void (^done)(NSError *error);
@end
