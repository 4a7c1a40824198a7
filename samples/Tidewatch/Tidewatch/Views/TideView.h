#import <UIKit/UIKit.h>

@class Tide;

@interface TideView : UIView

@property (nonatomic, strong) Tide *tide;
@property (nonatomic, weak) IBOutlet UILabel *heightLabel;

- (void)setTide:(Tide *)tide animated:(BOOL)animated;

@end
