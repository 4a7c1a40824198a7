#define NOTHING
#define CALL()
