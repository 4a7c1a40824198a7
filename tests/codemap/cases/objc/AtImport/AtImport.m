@import Foundation;
#import <UIKit/UIKit.h>
int after;
