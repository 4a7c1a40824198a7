enum A {
    case b(x: Int = 1, y: String = "case c")
    case d
}
