@implementation A
- (NSArray<NSDictionary<NSString *, id> *> *)list { return nil; }
- (id<B, C>)delegate { return nil; }
@end
