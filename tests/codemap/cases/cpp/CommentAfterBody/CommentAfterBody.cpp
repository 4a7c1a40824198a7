void run() { } // } not one
int after; /* { nor this */
