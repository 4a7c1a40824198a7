struct A {
    func f()) { g() }
    let a = 1)
    let b = 2
}
