struct A {
    let a =
    func f() {}
    var b: 
    let c = 1
}
