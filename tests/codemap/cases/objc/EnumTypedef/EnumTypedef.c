typedef enum { first, second } Order;
