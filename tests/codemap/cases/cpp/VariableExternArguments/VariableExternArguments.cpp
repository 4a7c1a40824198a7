extern Tide here(0);
extern Tide elsewhere(Sea);
extern Tide far;
int after;
