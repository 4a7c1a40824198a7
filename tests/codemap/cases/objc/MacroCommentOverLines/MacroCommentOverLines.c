#define WIDTH 3 /* points
    and { more */
int after;
