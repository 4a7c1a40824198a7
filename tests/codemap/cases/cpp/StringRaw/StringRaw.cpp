const char *a = R"(one { " two)";
const char *b = R"x()" } )x";
const char *c = u8R"(})";
int after;
