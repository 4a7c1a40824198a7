typedef enum tide tide;
typedef struct moon moon, *moonRef;
