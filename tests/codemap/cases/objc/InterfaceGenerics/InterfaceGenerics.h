@interface Box<__covariant Item : id<NSCopying>> : NSArray<Item> <NSCoding>
- (Item)item;
@end
