struct A {
    func f() {}
    @objc
}
let b = 1
