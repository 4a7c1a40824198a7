class A {
    func a(x: Int, y
