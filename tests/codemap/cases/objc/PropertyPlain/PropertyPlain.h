@interface A
@property int count;
@end
