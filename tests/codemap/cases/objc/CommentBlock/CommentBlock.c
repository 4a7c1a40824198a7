/* int hidden(void) { */
int shown;
