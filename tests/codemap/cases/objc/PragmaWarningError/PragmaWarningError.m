#warning Look at this
#error "Not on this system"
int shown;
