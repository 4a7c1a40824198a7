class A {
    let a = f(1, 2
    func b() {}
    private let c = 1
}
