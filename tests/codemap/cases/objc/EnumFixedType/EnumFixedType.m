typedef enum : NSUInteger { First, Second } Order;
enum Plain : int { A, B };
