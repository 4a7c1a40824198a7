@interface A
@property NSDictionary<NSString *, id<Foo>> *map;
@property id<One, Two> delegate;
@end
