extern NSString * const TideName;
UIKIT_EXTERN NSString * const TideMoved API_AVAILABLE(ios(9.0));
