struct A {
    #if DEBUG
    func f() {
        first()
    #else
    func f(x: Int) {
    #endif
        both()
    }
    func g() {}
}
let b = 1
