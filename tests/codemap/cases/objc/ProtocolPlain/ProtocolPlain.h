@protocol Observing
- (void)changed;
@end
