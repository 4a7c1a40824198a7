@interface A : NSObject
- (nullable NSString *)name:(nonnull NSString *)a;
- (NSString * _Nullable)other:(NSString * _Nonnull)b;
- (null_unspecified id)third;
@end
