@interface A : NSObject
#define DEPTH 3
- (void)run;
@end
