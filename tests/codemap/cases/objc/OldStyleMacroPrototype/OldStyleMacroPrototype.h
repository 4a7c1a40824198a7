extern int deflate OF((z_streamp strm, int flush));
extern int open_it PARAMS((const char *name));
