@interface A
- (void (^)(int))block;
@end
