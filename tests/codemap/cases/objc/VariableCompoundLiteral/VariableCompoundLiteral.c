int *list = (int[]){ 1, 2, 3 };
int after;
