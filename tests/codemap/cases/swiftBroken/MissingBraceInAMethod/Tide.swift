class A {
    func a() {
        if x {
            y()
    }

    func b() {}
}

class C {
    func d() {}
}
