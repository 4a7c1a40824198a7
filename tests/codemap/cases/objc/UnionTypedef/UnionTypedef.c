typedef union { int i; float f; } Value;
