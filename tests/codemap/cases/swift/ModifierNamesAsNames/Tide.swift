struct A {
    let open = 1, `final` = 2
    var lazy: Int, prefix: String
    func override() {}
    func required(optional: Int, static: Int) {}
    var indirect: Bool { true }
    let package = "a"
}
