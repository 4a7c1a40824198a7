FOUNDATION_EXPORT NSString *const TideDidRise;
extern void (^TideHandler)(int);
