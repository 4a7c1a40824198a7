enum { first, second };
