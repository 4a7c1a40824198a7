#import "AppDelegate.h"

#import "TideListController.h"

@implementation AppDelegate

#pragma mark - Life cycle

// navrel: Start of the app
- (BOOL)application:(UIApplication *)application
    didFinishLaunchingWithOptions:(NSDictionary *)options {
    self.window = [[UIWindow alloc] initWithFrame:UIScreen.mainScreen.bounds];
    self.window.rootViewController =
        [[UINavigationController alloc] initWithRootViewController:[TideListController new]];
    [self.window makeKeyAndVisible];
    return YES;
}

- (void)applicationDidEnterBackground:(UIApplication *)application {
#warning keep the last table for offline use
}

@end
