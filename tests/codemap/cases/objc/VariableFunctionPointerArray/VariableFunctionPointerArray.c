static void (*handlers[3])(int);
