typedef int (*Compare)(const void *, const void *);
typedef void Handler(int);
typedef struct tide *(*Maker)(void);
