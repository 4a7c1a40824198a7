@class Harbour, Tide;
@class Moon;
int after;
