namespace sea { class Tide { int a; }; }
@interface Bridge : NSObject {
    std::unique_ptr<sea::Tide> _tide;
}
@property (nonatomic) std::shared_ptr<sea::Tide> tide;
- (std::vector<int>)all:(const std::string &)name;
@end
@implementation Bridge
- (std::vector<int>)all:(const std::string &)name { return {1, 2}; }
static void helper(sea::Tide *tide) { auto f = [] { return 1; }; }
@end
