#if TARGET_OS_IPHONE
@interface A : UIView
#else
@interface A : NSView
#endif
- (void)run;
@end
