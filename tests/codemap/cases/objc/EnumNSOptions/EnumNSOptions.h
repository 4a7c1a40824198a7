typedef NS_OPTIONS(NSUInteger, TideOptions) {
    TideOptionsNone = 0,
    TideOptionsAll = 1 << 0,
} NS_SWIFT_NAME(Tide.Options);
