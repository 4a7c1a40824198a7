@interface A : NSObject
- (void)a;
@end
@interface B : A
- (void)b;
@end
