typedef enum { One, Two } Count;
@interface A : NSObject
@property Count count;
@end
