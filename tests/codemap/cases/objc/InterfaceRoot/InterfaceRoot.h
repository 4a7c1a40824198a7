NS_ROOT_CLASS
@interface Root
- (void)run;
@end
