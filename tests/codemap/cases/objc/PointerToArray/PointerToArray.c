int (*rows)[4];
int *(*deep[2])(void);
