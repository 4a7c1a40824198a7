#define RETAIN_VALUE(M, X)	
#define RELEASE_VALUE(M, X)	
#define PRIVATE(name) 

#define CREATE(name)
