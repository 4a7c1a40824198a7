A *a = new A{1, {2}};
B *b = new (place) B();
int after;
