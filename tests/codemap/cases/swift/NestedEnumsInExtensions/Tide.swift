extension A {
    enum B: String { case c = "d" }
    struct E: F { var g: B { .c } }
}
