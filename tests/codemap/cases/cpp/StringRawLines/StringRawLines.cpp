const char *a = R"SQL(
void hidden() {
// comment
#if 0
)SQL";
int after;
