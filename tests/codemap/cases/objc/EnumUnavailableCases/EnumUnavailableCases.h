typedef NS_ENUM(NSInteger, Kind) {
    KindOne API_AVAILABLE(ios(9.0)) = 1,
    KindTwo NS_SWIFT_NAME(second),
    KindThree __attribute__((deprecated)),
};
