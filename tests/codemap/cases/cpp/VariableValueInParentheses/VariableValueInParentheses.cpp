Tide tide((Tide()));
Tide ebb((1 + 2) * 3), flow(4);
int after;
