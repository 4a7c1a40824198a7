protocol A {
    static func make() -> Self
    static var name: String { get }
    static func + (a: Self, b: Self) -> Self
    prefix static func - (a: Self) -> Self
}
