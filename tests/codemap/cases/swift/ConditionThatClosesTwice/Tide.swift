class A {
    func f() {
        #if DEBUG
        one()
    }
        #else
        two()
    }
        #endif
    func g() {}
}
let b = 1
