@protocol A <NSObject>
@property (weak) id<B> delegate;
@property (readonly) NSDictionary<NSString *, NSArray<id> *> *table;
@end
