@interface A
@property int a, b, *c;
@end
