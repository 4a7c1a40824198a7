#import <Foundation/Foundation.h>
class Tide;
@interface Bridge : NSObject
- (Tide *)tide;
@end
