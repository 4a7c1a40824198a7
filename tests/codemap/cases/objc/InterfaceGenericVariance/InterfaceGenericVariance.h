@interface Box<__covariant T : id<NSCopying>> : NSObject
- (T)value;
@end
