@interface A
- (NSDictionary<NSString *, NSArray<NSNumber *> *> *)all;
- (__kindof UIView *)view;
- (nullable NSString *)name_of_it;
@end
