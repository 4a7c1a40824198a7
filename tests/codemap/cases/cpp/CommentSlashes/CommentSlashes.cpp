int a = 6 / 2; // {
int b = 6 /* } */ / 3;
const char *url = "http://a//b";
int after;
