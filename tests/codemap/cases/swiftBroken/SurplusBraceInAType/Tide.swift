class A {
    func a() {}
    }
    func b() {}
}
let c = 1
