class A {
    func a() {
        x() }
    }
    func b() {}
}
func c() {}
