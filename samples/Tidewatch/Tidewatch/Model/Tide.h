#import <Foundation/Foundation.h>

typedef NS_ENUM(NSInteger, TideKind) { TideKindLow, TideKindHigh };

@interface Tide : NSObject <NSCopying>

@property (nonatomic, readonly) TideKind kind;
@property (nonatomic, readonly) double height;
@property (nonatomic, copy, readonly) NSDate *time;

- (instancetype)initWithKind:(TideKind)kind height:(double)height time:(NSDate *)time;
- (NSComparisonResult)compare:(Tide *)other;
+ (instancetype)lowTideAt:(NSDate *)time;

@end
