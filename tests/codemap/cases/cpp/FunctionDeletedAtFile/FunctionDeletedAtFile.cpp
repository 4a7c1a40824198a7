void run(int) = delete;
int after;
