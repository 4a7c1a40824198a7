struct A {
    public init(_ b: Int, c: Int...) { self.b = b }
    init<T>(d: T) where T: P {}
    init(e: () -> Void = {}) rethrows {}
}
