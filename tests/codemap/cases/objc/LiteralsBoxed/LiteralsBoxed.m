NSDictionary *table(void) { return @{@"{": @[@1, @(2)], @"}": @YES}; }
int after;
