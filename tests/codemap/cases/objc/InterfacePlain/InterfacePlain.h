@interface Tide
@end
