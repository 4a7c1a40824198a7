typedef __typeof__(sizeof(int)) size;
