char open = '{', close = '}';
const char *text = "}{" "\"}";
int after;
