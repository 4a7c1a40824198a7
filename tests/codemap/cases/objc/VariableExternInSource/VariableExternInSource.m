extern NSString * const TideName;
NSString * const TideOther = @"other";
