static dispatch_once_t token;
static A *shared = nil;
