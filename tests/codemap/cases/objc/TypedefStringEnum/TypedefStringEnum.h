typedef NSString *TideKey NS_STRING_ENUM;
