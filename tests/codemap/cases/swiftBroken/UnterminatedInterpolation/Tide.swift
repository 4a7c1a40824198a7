struct A {
    let a = "open \(b
    let c = 1
}
let d = 2
