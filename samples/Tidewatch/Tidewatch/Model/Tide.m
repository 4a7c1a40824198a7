#import "Tide.h"

@implementation Tide

- (instancetype)initWithKind:(TideKind)kind height:(double)height time:(NSDate *)time {
    if ((self = [super init])) {
        _kind = kind;
        _height = height;
        _time = [time copy];
    }
    return self;
}

+ (instancetype)lowTideAt:(NSDate *)time {
    return [[self alloc] initWithKind:TideKindLow height:0 time:time];
}

#pragma mark - Comparing

// navrel: Order of the tides
- (NSComparisonResult)compare:(Tide *)other {
    return [self.time compare:other.time];
}

#pragma mark - NSCopying

- (id)copyWithZone:(NSZone *)zone {
    return self;
}

@end
