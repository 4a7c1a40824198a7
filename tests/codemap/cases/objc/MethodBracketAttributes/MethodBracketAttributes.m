@interface Tide
- (void) [[clang::ns_consumes_self]] rise;
- (void) [[clang::ns_consumes_self]] fall: (int)metres;
- (void)set: (int *) [[clang::noescape]] value to: (int)last [[clang::unused]];
- (void)plain:(NSString *)a with:(int)b __attribute__((unused));
@end
