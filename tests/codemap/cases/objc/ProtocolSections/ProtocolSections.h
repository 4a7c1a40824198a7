@protocol A
- (void)first;
@optional
- (void)second;
@required
- (void)third;
@end
