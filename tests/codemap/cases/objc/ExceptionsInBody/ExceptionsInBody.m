@implementation A
- (void)run {
    @try { b(); } @catch (NSException *e) { c(); } @finally { d(); }
    @autoreleasepool { e(); }
    @synchronized (self) { f(); }
}
- (void)after { }
@end
