@interface
@end
int after;
