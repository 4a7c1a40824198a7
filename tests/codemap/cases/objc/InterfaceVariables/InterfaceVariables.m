@interface Tide : NSObject {
    int height;
@private
    NSString *name, *place;
@protected
    void (^block)(int a);
@public
    id<Observer> observer;
}
- (void)rise;
@end
