typedef float float4 __attribute__((ext_vector_type(4)));
typedef __typeof__(1 + 2) sum;
