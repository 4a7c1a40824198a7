int before;
/* never ends
int after;
