@interface A : NSObject {
    IBOutlet UILabel *label;
    __weak id<Moving> mover;
    NSArray<NSString *> *names, *others;
    void (^block)(int);
}
@end
