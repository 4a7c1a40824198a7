void run(int) {}
void run(char) {}
void run() {}
