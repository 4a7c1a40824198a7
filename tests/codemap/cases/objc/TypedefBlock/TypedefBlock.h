typedef void (^TideBlock)(NSError * _Nullable error);
typedef NSString * _Nonnull (^TideName)(void);
