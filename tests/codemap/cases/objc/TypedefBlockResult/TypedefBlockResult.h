typedef NSString *(^Namer)(int, void (^)(void));
typedef void (^Done)(NSError *_Nullable error);
