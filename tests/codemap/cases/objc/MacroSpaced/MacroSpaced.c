  #  define   SPACED(x)   x
