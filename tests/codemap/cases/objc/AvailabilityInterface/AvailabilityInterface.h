API_AVAILABLE(ios(13.0), macos(10.15))
@interface Harbour : NSObject
@end
