typedef float matrix[4][4];
