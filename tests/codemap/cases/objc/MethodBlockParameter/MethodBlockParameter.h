@interface A
- (void)run:(void (^)(NSError *error, id<Foo> x))block then:(int (*)(int))next;
@end
