  #  define DEPTH 3
	#ifdef DEPTH
int a;
    #endif
