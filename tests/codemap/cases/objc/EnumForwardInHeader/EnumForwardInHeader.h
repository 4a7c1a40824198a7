enum tide;
typedef enum tide tide_t;
