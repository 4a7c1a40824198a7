struct tide { enum { low, high } kind; int a; };
