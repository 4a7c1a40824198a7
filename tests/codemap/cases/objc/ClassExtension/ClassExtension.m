@interface Tide ()
@property int hidden;
@end
