enum kind {
    one, /* the first, */
    two, // the second, three
    /* four, */
};
