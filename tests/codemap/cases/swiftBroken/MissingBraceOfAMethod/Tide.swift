struct A {
    func a() {
        x()

    func b() {}
    let c = 1
}
func d() {}
