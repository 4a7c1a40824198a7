static int spare __attribute__((unused)) = 1;
static int extra UNUSED;
