@interface A () <B, C>
@property (nonatomic) int depth;
- (void)hidden;
@end
