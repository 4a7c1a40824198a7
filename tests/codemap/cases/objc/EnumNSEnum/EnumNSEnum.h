typedef NS_ENUM(NSInteger, TideKind) {
    TideKindEbb,
    TideKindFlood = 4,
};
