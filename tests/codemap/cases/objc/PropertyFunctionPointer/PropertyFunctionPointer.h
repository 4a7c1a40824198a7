@interface A
@property int (*call)(int a);
@end
