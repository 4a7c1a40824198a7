struct A {
    let a = 1
}