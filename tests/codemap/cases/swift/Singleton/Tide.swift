final class A {
    static let shared = A()
    private init() {}
}
