@interface Fleet : NSArray<Ship *> <Moving>
@end
