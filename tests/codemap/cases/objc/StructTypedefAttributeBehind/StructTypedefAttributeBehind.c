typedef struct {
    int i;
} Aligned __attribute__((aligned(32)));

typedef struct {} Old DEPRECATED("use Aligned");
typedef union { int a; } PACKED(1) Packed;
typedef struct { int b; } POINT ALIGNED(8);
typedef enum { kOne } *Pointer UNUSED;
