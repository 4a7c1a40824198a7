@protocol A
- (void)update NS_REQUIRES_SUPER;
- (void)moveX:(int)x Y:(int)y;
@end
