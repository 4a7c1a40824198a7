class A {
    func a() {
        let b = "x
