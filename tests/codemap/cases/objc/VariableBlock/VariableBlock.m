static void (^completion)(BOOL done) = ^(BOOL done) { int local = 1; };
