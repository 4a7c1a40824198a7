class A {
    var b: Int = { 1 }() {
        didSet { c() }
    }
    var d = [1, 2].map { $0 } {
        willSet { let e = 1 }
    }
    var f: Int
}
