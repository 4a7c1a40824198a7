@interface A
+ (instancetype)shared;
@end
