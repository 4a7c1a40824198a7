@interface A
- (void)rise NS_REQUIRES_SUPER;
- (void)move:(int)a NS_SWIFT_NAME(move(by:));
- (instancetype)init NS_UNAVAILABLE;
- (void)old __attribute__((deprecated("x")));
- (void)take:(__unused int)a with:(int)b API_AVAILABLE(ios(9.0));
@end
