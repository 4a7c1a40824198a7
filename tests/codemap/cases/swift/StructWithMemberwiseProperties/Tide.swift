struct A {
    let a, b: Int
    var c: [Int] = [1, 2], d: String?
}
