#import "TideView.h"

#import "Tide.h"

@implementation TideView

- (void)setTide:(Tide *)tide {
    [self setTide:tide animated:NO];
}

- (void)setTide:(Tide *)tide animated:(BOOL)animated {
    _tide = tide;
    self.heightLabel.text = [NSString stringWithFormat:@"%.1f m", tide.height];
    [self setNeedsDisplay];
}

#pragma mark - Drawing

// navrel: Drawing the water
- (void)drawRect:(CGRect)rect {
    [[UIColor colorWithWhite:0.9 alpha:1] setFill];
    UIRectFill(rect);
}

@end
