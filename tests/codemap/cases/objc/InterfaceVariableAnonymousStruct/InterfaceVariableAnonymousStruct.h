@interface Session : NSObject {
    /* instance variables */
    struct { unsigned int opaque; } _lock;
    union Value { int whole; float part; } _value;
    int _last;
}
@end
