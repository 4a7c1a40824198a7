return 3;
if (a) { b(); }
int after;
