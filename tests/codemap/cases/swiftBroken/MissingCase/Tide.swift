enum A {
    case
    case b
    case c(
    case d
}
