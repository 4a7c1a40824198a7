struct A {
    let a = "open
    let b = 1
    func c() {}
}
let d = 2
