@implementation A
- (IBAction)tap:(id)sender { }
- (instancetype)init { return self; }
- (BOOL)isHigh { return YES; }
@end
