struct A {
    #endif
    let a = 1
    #else
    let b = 1
}
