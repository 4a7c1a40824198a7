class A: B {
    override init() { super.init() }
    var copy: Self { self }
    static let type = Self.self
    func f() -> Self { return self }
}
