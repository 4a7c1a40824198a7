typedef enum order { first, second } Order;
