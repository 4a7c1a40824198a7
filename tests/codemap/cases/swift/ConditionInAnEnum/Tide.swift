enum A {
    case a
    #if DEBUG
    case b
    #endif
    case c
}
