@interface A : NSObject {
    int a;
@public
    int b;
@private
    int c;
@package
    int d;
@protected
    int e;
}
@end
