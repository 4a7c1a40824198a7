/* one /* two */
int shown;
