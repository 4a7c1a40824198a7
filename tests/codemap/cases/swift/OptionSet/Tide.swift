struct A: OptionSet {
    let rawValue: Int
    static let b = A(rawValue: 1 << 0)
    static let c: A = [.b, .d]
}
