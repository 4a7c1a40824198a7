struct A {
    let a = 1 << 2, b = 8 >> 1
    static let c = A(rawValue: 1 << 0), d = A(rawValue: 1 << 1)
}
