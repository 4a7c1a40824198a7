protocol A {
    subscript(x: Int) -> Int { get set }
    subscript<T>(key: T) -> Int? { get }
    static subscript(name name: String) -> Int { get }
}
