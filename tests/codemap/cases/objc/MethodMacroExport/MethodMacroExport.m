@implementation Module
RCT_EXPORT_MODULE()
RCT_EXPORT_METHOD(open:(NSString *)path then:(int)a)
{
    if (path) { }
}
- (void)after { }
@end
