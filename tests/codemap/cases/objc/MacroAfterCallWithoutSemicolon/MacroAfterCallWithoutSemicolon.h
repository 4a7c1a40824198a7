DEFINE_HANDLE(Device)
DEFINE_HANDLE(Queue)
#define NO_QUEUE (~0U)
#define QUEUE_FALSE 0U

typedef enum Result {
    SUCCESS = 0,
} Result;
