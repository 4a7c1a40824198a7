typedef NS_CLOSED_ENUM(NSInteger, Side) { SideLeft, SideRight };
typedef NS_ERROR_ENUM(TideErrorDomain, TideError) { TideErrorLost = 1 };
