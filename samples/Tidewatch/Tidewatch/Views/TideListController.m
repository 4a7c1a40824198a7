#import "TideListController.h"

#import "Tide.h"

@interface TideListController ()
@property (nonatomic, copy) NSArray<Tide *> *tides;
@end

@implementation TideListController

#pragma mark - View

- (void)viewDidLoad {
    [super viewDidLoad];
    [self reload];
}

// navrel: Reloading the list
- (void)reload {
    [self.tableView reloadData];
}

#pragma mark - Table view

- (NSInteger)tableView:(UITableView *)tableView numberOfRowsInSection:(NSInteger)section {
    return self.tides.count;
}

- (UITableViewCell *)tableView:(UITableView *)tableView
         cellForRowAtIndexPath:(NSIndexPath *)indexPath {
#warning reuse the cells
    return [UITableViewCell new];
}

@end
