#import <UIKit/UIKit.h>

@interface TideListController : UITableViewController

- (void)reload;

@end
