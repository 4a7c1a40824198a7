typedef int number, *pointer, row[4];
