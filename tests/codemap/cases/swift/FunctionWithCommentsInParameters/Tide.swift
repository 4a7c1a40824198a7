func a(
    // first
    b: Int, // , c: Int
    /* d: Int, */ e: Int
) {}
