int value = ({ int inner = 1; inner; });
int after;
