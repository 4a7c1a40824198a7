@implementation A
- (void)run {
    dispatch_async(queue, ^{
        if (a) { b(); }
    });
}
- (void)after { }
@end
