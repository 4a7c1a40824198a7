struct tide { int class; int new; };
int delete(struct tide *this);
