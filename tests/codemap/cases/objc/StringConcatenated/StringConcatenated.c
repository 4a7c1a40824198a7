const char *text = "one {" "two }"
                   "three";
int after;
