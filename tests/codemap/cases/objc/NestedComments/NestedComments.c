/* one /* two */
int after;
