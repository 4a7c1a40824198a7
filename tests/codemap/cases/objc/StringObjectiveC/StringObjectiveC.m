NSString *a = @"{ \" }";
NSString *b = @"one" @"two {";
int shown;
