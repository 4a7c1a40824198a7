@interface A : NSObject {
    int a;

- (void)rise;
@end
@interface B : NSObject
- (void)ebb;
@end
