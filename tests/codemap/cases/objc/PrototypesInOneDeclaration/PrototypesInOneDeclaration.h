int first(void), second(int);
