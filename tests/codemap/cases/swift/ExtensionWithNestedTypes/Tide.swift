extension A {
    struct B { let c = 1 }
    enum D { case e }
    typealias F = Int
}
