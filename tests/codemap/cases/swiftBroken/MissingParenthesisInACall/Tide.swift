class A {
    func a() {
        f(1, [2
    }
    func b() {}
}
