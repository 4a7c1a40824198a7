static NSArray *list;
void fill(void) { list = @[ @1, @{ @"a" : @(2) } ]; }
int shown;
