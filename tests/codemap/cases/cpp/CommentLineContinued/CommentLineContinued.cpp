// goes on \
int hidden;
int shown;
