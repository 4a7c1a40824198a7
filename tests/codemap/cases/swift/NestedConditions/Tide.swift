struct A {
#if a
    #if b
    let x = 1
    #else
    let y = 1
    #endif
#else
    #if c
    func f() {
    #else
    func g() {
    #endif
    }
#endif
    let z = 1
}
