extern int elsewhere;
extern const int here = 3;
