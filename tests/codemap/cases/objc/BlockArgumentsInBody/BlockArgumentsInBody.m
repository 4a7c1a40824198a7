@implementation A
- (void)run {
    [self each:^(int a) { if (a) { b(); } } then:^{ }];
}
- (void)after { }
@end
