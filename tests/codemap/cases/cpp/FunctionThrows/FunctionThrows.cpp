void run() throw(std::bad_alloc) { }
void rise() throw() { }
