@implementation Tide {
    int height;
    NSString *name;
}
@synthesize height = _height, name;
@dynamic place;
- (void)rise { }
@end
