enum A {
    case a // case b
    /* case c */ case d
    case e, // first
         f  // second
}
