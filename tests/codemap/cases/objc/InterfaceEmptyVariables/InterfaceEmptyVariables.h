@interface A : NSObject {
}
- (void)run;
@end
