struct A { void run(); } ;
void A::run() { }
