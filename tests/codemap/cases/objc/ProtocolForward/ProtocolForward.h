@protocol Observing;
@protocol One, Two;
@class Tide, Ebb;
@import Foundation;
@compatibility_alias Old New;
int after;
